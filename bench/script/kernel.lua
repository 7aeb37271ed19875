-- A nested-loop numeric kernel: 1000 x 1000 multiply-adds.
local start = os.clock()
local s = 0
for i = 0, 999 do
  for j = 0, 999 do
    s = s + i * j + i
  end
end
print(os.clock() - start, s)
