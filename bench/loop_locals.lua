-- The work of loop.dvs in Lua 5.4 with local variables, timed inside the interpreter; prints seconds.
local start = os.clock()
local X = 0
local S = ""
for I = 1, 1000000 do
  X = X + I * 2
  S = "Schritt"
end
print(os.clock() - start, X, S)
