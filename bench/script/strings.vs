// String building: 20,000 numbers appended one by one, each with a comma.
s = "";
for (i = 0; i < 20000; i++) s = s + i + ",";
result = s.strlen();
