function f(k) { while (1) { for (q = 0; q < 9; q++) { if (q == k) return q * 10; }; }; };
v = f(3);
i = 0; do { i++; } while (i < 5);
Echo("v=" + v);
