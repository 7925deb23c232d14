-- Runs the chilled-water plant: the offices at 24 degrees by their coil valves, the chilled water at 8 degrees by
-- the compressors' speed. When no office asks for cold the plant rests.
local TARGET, WATER = 24, 8
local outside = schedule{{5, 22}, {9, 34}, {18, 34}, {22, 22}, linear = true}
local demand = hysteresis{on = 24, off = 22.5}
local second = delay_on{seconds = 900}
local room, chiller = {}, {}
for office = 1, 3 do
  room[office] = pid{kp = 0.4, ti = 1800, low = 0.05, high = 1, start = 0.05, reverse = true}
end
for number = 1, 2 do
  chiller[number] = pid{kp = 0.3, ti = 300, low = 0, high = 5, reverse = true}
end

local function run(number, on)
  set("chilled pump " .. number .. "_Head", on and 18 or 0)
  set("tower pump " .. number .. "_Head", on and 12 or 0)
  local power = chiller[number](WATER, get("evaporator " .. number .. "_IM1_TEMP"))
  set("compressor " .. number .. "_Power", on and power or 0)
end

function step()
  local warmest = -100
  set("GOutside", outside())
  for office = 1, 3 do
    local inside = get("office " .. office .. "_InsideTemperature")
    set("office " .. office .. "_OutsideTemperature", outside())
    local opening = room[office](TARGET, inside)
    set("coil valve " .. 2 * office - 1 .. "_Opening", opening)
    set("coil valve " .. 2 * office .. "_Opening", opening)
    warmest = math.max(warmest, inside)
  end
  local on = demand(warmest)
  run(1, on)
  run(2, on and second(get("chilled supply_Temperature") > WATER + 4))
end
