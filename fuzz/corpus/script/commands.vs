s = "track";
v = s.Md5() + s.Cod5();
n = Velantis.InputUser("Name?", "peak");
Velantis.MessageBox(n); Velantis.Warning(v);
a = Velantis.DirScan("/tmp", "*.trk");
r = Velantis.Exec("info " + a[0]);
Velantis.ZoomTo(1, 2, 3);
