local function add4(a, b, c, d) return a + b + c + d end
local function run(n) local s = 0 for i = 0, n - 1 do s = add4(s, i, 1, 2) % 1000 end return s end
io.write(run(10000000))
