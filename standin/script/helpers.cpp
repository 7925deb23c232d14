#include "standin/script/sandbox.h"

namespace standin {

// Each helper takes its settings in a table and gives a function that is called once a step. A setting that
// is missing or unknown is a fault of the line that asks for the helper.
const char* const ScriptHelpers = R"lua(
local step_seconds, time = step_seconds, time
local floor, max, min, huge = math.floor, math.max, math.min, math.huge

local function settings(helper, given, defaults, needed)
  if type(given) ~= "table" then error(helper .. ": a table of settings is expected", 3) end
  for _, name in ipairs(needed) do
    if given[name] == nil then error(helper .. ": the setting '" .. name .. "' is missing", 3) end
  end
  local all = {}
  for name, value in pairs(defaults) do all[name] = value end
  for name, value in pairs(given) do
    if defaults[name] == nil then error(helper .. ": there is no setting '" .. tostring(name) .. "'", 3) end
    if type(value) ~= type(defaults[name]) then
      error(helper .. ": the setting '" .. name .. "' must be a " .. type(defaults[name]), 3)
    end
    all[name] = value
  end
  return all
end

local function number(helper, name, value)
  if type(value) ~= "number" then error(helper .. ": the " .. name .. " must be a number", 3) end
  return value
end

-- Proportional, integral and derivative parts; the integral stops where the output is at its limit.
function pid(given)
  local s = settings("pid", given,
    {kp = 1, ti = huge, td = 0, low = 0, high = 1, start = 0, reverse = false}, {"kp"})
  local integral, last = s.start, nil
  return function(target, value)
    local off = number("pid", "target", target) - number("pid", "value", value)
    if s.reverse then off = -off end
    local change = last == nil and 0 or (off - last) / step_seconds()
    last = off
    local part = s.kp * (off + s.td * change)
    local onward = integral + s.kp * off * step_seconds() / s.ti
    local output = part + onward
    if not (output > s.high and onward > integral or output < s.low and onward < integral) then
      integral = min(max(onward, s.low), s.high)
    end
    return min(max(part + integral, s.low), s.high)
  end
end

-- On from `on` on, off from `off` on; `on` below `off` switches on at low values.
function hysteresis(given)
  local s = settings("hysteresis", given, {on = 0, off = 0, start = false}, {"on", "off"})
  local state, rising = s.start, s.on > s.off
  return function(value)
    number("hysteresis", "value", value)
    if rising and value >= s.on or not rising and value <= s.on then
      state = true
    elseif rising and value <= s.off or not rising and value >= s.off then
      state = false
    end
    return state
  end
end

-- Rows {HOUR, VALUE} in the order of their hours, again in each period; `linear` goes from row to row.
function schedule(given)
  if type(given) ~= "table" then error("schedule: a table of rows is expected", 2) end
  local period, linear = given.period or 24, given.linear or false
  local count = #given
  if count == 0 then error("schedule: there is no row", 2) end
  for row = 1, count do
    if type(given[row]) ~= "table" then error("schedule: a row is {HOUR, VALUE}", 2) end
    local hour, value = given[row][1], given[row][2]
    if type(hour) ~= "number" or type(value) ~= "number" then error("schedule: a row is {HOUR, VALUE}", 2) end
    if hour < 0 or hour >= period or row > 1 and hour <= given[row - 1][1] then
      error("schedule: the hours must rise, from 0 on and below the period", 2)
    end
  end
  return function()
    local hour = time() / 3600 % period
    local at = 0
    while at < count and given[at + 1][1] <= hour do at = at + 1 end
    local from = given[at == 0 and count or at]
    if not linear then return from[2] end
    local to = given[at == count and 1 or at + 1]
    local length = (to[1] - from[1]) % period
    if length == 0 then return from[2] end
    return from[2] + (to[2] - from[2]) * ((hour - from[1]) % period) / length
  end
end

-- Follows its target by at most `rate` a second.
function ramp(given)
  local s = settings("ramp", given, {rate = 1, start = 0}, {"rate"})
  local value = given.start
  return function(target)
    number("ramp", "target", target)
    if value == nil then value = target end
    local most = s.rate * step_seconds()
    value = value + min(max(target - value, -most), most)
    return value
  end
end

-- True once its condition has been true for that many seconds without a break.
function delay_on(given)
  local s = settings("delay_on", given, {seconds = 0}, {"seconds"})
  local since
  return function(condition)
    if not condition then
      since = nil
    elseif since == nil then
      since = time()
    end
    return since ~= nil and time() - since >= s.seconds
  end
end
)lua";

}  // namespace standin
