-- The work of loop.dvs in Lua 5.4 with global variables (the loop counter of a numeric for is
-- always local in Lua), timed inside the interpreter; prints seconds.
local start = os.clock()
X = 0
S = ""
for I = 1, 1000000 do
  X = X + I * 2
  S = "Schritt"
end
print(os.clock() - start)
