-- A counting loop of 10,000,000 iterations.
local start = os.clock()
local n = 0
for i = 0, 9999999 do n = n + 1 end
print(os.clock() - start, n)
