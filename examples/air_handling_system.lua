-- Runs the air-handling system: each room at 23 degrees by its damper, and fresh air by a schedule: the fan at full
-- speed by day, slower by night.
local outside = schedule{{5, 20}, {14, 30}, linear = true}
local fan = ramp{rate = 0.05, start = 15}
local speed = schedule{{0, 15}, {6, 40}, {20, 15}}
local rooms = {"hall 1", "hall 2", "hall 3", "hall 4", "lab 1", "lab 2", "lab 3"}
local damper = {}
for _, room in ipairs(rooms) do
  damper[room] = pid{kp = 0.3, ti = 1800, low = 0.1, high = 1, start = 0.5, reverse = true}
end

function step()
  set("GOutside", outside())
  set("supply fan_Head", fan(speed()))
  for _, room in ipairs(rooms) do
    set(room .. "_OutsideTemperature", outside())
    set(room .. " damper_Opening", damper[room](23, get(room .. "_InsideTemperature")))
  end
end
