-- String building: 20,000 numbers appended one by one, each with a comma.
local start = os.clock()
local s = ""
for i = 0, 19999 do s = s .. i .. "," end
print(os.clock() - start, #s)
