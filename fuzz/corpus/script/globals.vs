Monitor.Log("x"); Monitor.Start(2); Monitor.Step(); Monitor.End();
Config.Proximity_Radius = 25; Config.Proximity_Radius += 1; Echo(Config.Proximity_Radius + "");
SetProjection("UTM 31T", "WGS 84"); r = new("TRectProj"); r.lat1 = 42; r.lon1 = 1;
w = Velantis.OpenWPT("/tmp/none.wpt"); w.SaveAs("/tmp/x.wpt"); Velantis.ConfigComm();
function OnConfigComm() { Velantis.CloseAll(); return ObjectAtPtr(1); };
