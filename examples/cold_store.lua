-- Runs the cold store: the cold room at -20 degrees by the compressor, the packing room at 12 degrees by the
-- brine, and the brine at -4 degrees by the opening of the evaporator's expansion valve.
local outside = schedule{{4, 18}, {14, 30}, linear = true}
local cold = hysteresis{on = -19.5, off = -20.5}
local packing = hysteresis{on = 12.5, off = 11.5, start = true}
local brine = pid{kp = 0.05, ti = 600, low = 0, high = 1, reverse = true}

function step()
  set("GOutside", outside())
  set("packing room_OutsideTemperature", outside())
  set("tower pump_Head", 12)
  local freeze = cold(get("cold room_BKT_TEMP"))
  local chill = packing(get("packing room_InsideTemperature"))
  set("compressor_Power", (freeze or chill) and 6 or 0)
  set("expansion valve 1_Opening", freeze and 1 or 0)
  set("expansion valve 2_Opening", freeze and 1 or 0)
  set("brine pump_Head", chill and 10 or 0)
  local opening = brine(-4, get("evaporator_IM3_TEMP"))
  set("expansion valve 3_Opening", chill and opening or 0)
end
