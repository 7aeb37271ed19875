// A nested-loop numeric kernel: 1000 x 1000 multiply-adds.
s = 0;
for (i = 0; i < 1000; i++) {
  for (j = 0; j < 1000; j++) {
    s = s + i * j + i;
  };
};
result = s;
