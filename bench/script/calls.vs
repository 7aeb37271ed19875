// 1,000,000 calls of a declared function of two parameters.
function add(a, b) { return a + b; };
t = 0;
for (i = 0; i < 1000000; i++) t = add(t, i);
result = t;
