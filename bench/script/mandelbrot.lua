local function escape(cx, cy)
    local x, y = 0.0, 0.0
    for n = 0, 99 do
        local t = x * x - y * y + cx
        y = 2.0 * x * y + cy
        x = t
        if x * x + y * y > 4.0 then return n end
    end
    return 100
end
local function run(size)
    local total = 0
    for i = 0, size - 1 do
        for k = 0, size - 1 do
            total = total + escape(-2.0 + 3.0 * k / size, -1.5 + 3.0 * i / size)
        end
    end
    return total
end
io.write(run(400) > 0 and "TRUE" or "FALSE")
