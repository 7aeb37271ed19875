a = 1 - 2 + 3;
x = 7 % 4 + 1;
s = "ab" "cd"; n = .5; h = 0x1f;
if (a) b = 1; else b = 2;
