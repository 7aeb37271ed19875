x = new("TArray"); x.Add(3); x.Add("s"); x.Add(x); x.Sort(); Echo(x[1] + x.Count());
r = new("TRectProj"); r.SetValues(0, 0, 1000, 500); r.Increase(10); r.Start(3);
while (r.Step() && r.Width() > 0) { r.x2 = r.x2 / 2; }; v = r.lat1;
t = Velantis.CreateTrack("T"); t.CreateNewTrackPoint(1, 2, 3); t.Recalculate(); q = t[0].lon;
