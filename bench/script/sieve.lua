local function sieve(n)
    local flags, count = {}, 0
    for i = 0, n - 1 do flags[i] = 1 end
    for i = 2, n - 1 do
        if flags[i] ~= 0 then
            count = count + 1
            for k = i + i, n - 1, i do flags[k] = 0 end
        end
    end
    return count
end
local found = 0
for turn = 1, 150 do found = sieve(60000) end
io.write(found)
