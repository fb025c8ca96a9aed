local px, py, pz, vx, vy, vz, mass = {}, {}, {}, {}, {}, {}, {}
local sqrt = math.sqrt
local function body(i, x, y, z, u, v, w, m)
    px[i] = x; py[i] = y; pz[i] = z; vx[i] = u; vy[i] = v; vz[i] = w; mass[i] = m
end
local function advance(dt)
    for i = 0, 4 do
        local mi = mass[i]
        for k = i + 1, 4 do
            local dx, dy, dz = px[i] - px[k], py[i] - py[k], pz[i] - pz[k]
            local d2 = dx * dx + dy * dy + dz * dz
            local mag = dt / (d2 * sqrt(d2))
            local mk = mass[k]
            vx[i] = vx[i] - dx * mk * mag; vy[i] = vy[i] - dy * mk * mag; vz[i] = vz[i] - dz * mk * mag
            vx[k] = vx[k] + dx * mi * mag; vy[k] = vy[k] + dy * mi * mag; vz[k] = vz[k] + dz * mi * mag
        end
    end
    for i = 0, 4 do px[i] = px[i] + dt * vx[i]; py[i] = py[i] + dt * vy[i]; pz[i] = pz[i] + dt * vz[i] end
end
body(0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 39.47)
body(1, 4.84, -1.16, -0.10, 0.606, 2.81, -0.02, 0.037)
body(2, 8.34, 4.12, -0.4, -1.01, 1.82, 0.008, 0.011)
body(3, 12.89, -15.11, -0.22, 1.08, 0.868, -0.01, 0.0017)
body(4, 15.37, -25.9, 0.179, 0.979, 0.594, -0.034, 0.002)
for turn = 1, 150000 do advance(0.01) end
io.write(px[0] > -100.0 and "TRUE" or "FALSE")
