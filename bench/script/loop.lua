local function run() local s = 0 for i = 0, 49999999 do s = s + i % 7 end return s end
io.write(run())
