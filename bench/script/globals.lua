total = 0
step = 3
function bump() total = total + step; if total > 1000000 then total = total - 1000000 end end
i = 0
while i < 10000000 do bump(); i = i + 1 end
io.write(total)
