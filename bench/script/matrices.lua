local Matrix = {}
Matrix.__index = Matrix
Matrix.__mul = function(a, b)
    local c = setmetatable({}, Matrix)
    for i = 0, 3 do
        local x, y, z = a[i * 3 + 1], a[i * 3 + 2], a[i * 3 + 3]
        for j = 1, 3 do
            c[i * 3 + j] = x * b[j] + y * b[3 + j] + z * b[6 + j] + (i == 3 and b[9 + j] or 0)
        end
    end
    return c
end
local function run(n)
    local c, s = math.cos(math.rad(1)), math.sin(math.rad(1))
    local m = setmetatable({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, Matrix)
    local r = setmetatable({c, s, 0, -s, c, 0, 0, 0, 1, 0, 0, 0}, Matrix)
    for i = 1, n do m = m * r end
    return m
end
io.write(type(run(1500000)) == "table" and "OBJECT" or "")
