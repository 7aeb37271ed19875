w = new("TWaypoints"); w.Name = "L"; a = w.CreateWpt("A", 40.5, -3.5);
b = w.CreateWpt("Bravo", 41, -3); w[0].Name += "x"; c = b.Coord; c.lat = 10;
c.SetCoord_UTM("30T", 440000, 4470000); Echo(w.Rect.lat1 + w.Rect.width + w.Count());
w.Sort(); k = w.Contains("Bravo"); a.Coord = new("TCoord"); v = w.Elem(5);
