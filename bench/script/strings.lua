local function run(n)
    local s, found = "", 0
    for i = 0, n - 1 do
        s = s .. "item" .. i .. ";"
        if #s > 2000 then
            found = found + (s:find("item99;", 1, true) or 0) - 1 + (s:find("9;x", 1, true) or 0) - 1
            s = ""
        end
    end
    return found
end
io.write(run(1500000))
