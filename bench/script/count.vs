// A counting loop of 10,000,000 iterations.
n = 0;
for (i = 0; i < 10000000; i++) n++;
result = n;
