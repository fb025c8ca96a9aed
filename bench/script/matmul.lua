local function run(n)
    local a, b, c = {}, {}, {}
    for i = 0, n - 1 do
        a[i], b[i], c[i] = {}, {}, {}
        for j = 0, n - 1 do a[i][j] = i + j; b[i][j] = i - j end
    end
    for i = 0, n - 1 do
        for j = 0, n - 1 do
            local s = 0
            for k = 0, n - 1 do s = s + a[i][k] * b[k][j] end
            c[i][j] = s
        end
    end
    return c[10][10]
end
io.write(run(220))
