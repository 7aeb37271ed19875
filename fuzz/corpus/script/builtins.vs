s = "Hola mundo"; s.A_Mayusculas(); n = s.strlen();
t = s.SubString(2, 3) + s.strstr("MU") + "12".atoi();
s.Replace("O", "0"); Echo(s.FileNameChangeExt(".x") + max(1, 2) + RoundInt(-2.5));
