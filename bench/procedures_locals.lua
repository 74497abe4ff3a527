-- The work of procedures.dvs in Lua 5.4 with a local function and a local result, timed inside the
-- interpreter; prints seconds.
local Summe = 0
local function Addiere(A, B, C)
  Summe = A + B + C
end

local start = os.clock()
for I = 1, 100000 do
  Addiere(I, 2, 3)
end
print(os.clock() - start, Summe)
