-- What the sessions hold: build.lua puts it in, reopen.lua looks for it again. The same settings, changes and notes go to
-- tarvelline-render in tools/daw-check.
local settings = {}

-- In the order in which the host lists the parameters.
settings.ids = { "mainRange", "timbRange", "mainWheelPar", "mainGravityPar", "mainInertiaPar", "mainSmoothPar", "mainSnap",
	"timbWheelPar", "timbGravityPar", "timbInertiaPar", "timbSmoothPar", "timbSnap", "mixerPar", "toggleSize", "midiOptions" }

local number = {}
for i, id in ipairs (settings.ids) do number[id] = i - 1 end

-- Lines of "id=value": each a parameter's number and value.
function settings.values (path)
	local values = {}
	for line in io.lines (path) do
		local id, value = line:match ("^(%w+)=([%d.]+)$")
		if id then values[#values + 1] = { parameter = number[id], value = tonumber (value) } end
	end
	return values
end

-- Lines of "seconds,id,value": times and values for each parameter's number. Ardour joins points by lines: before each step
-- there is a point with the value until then.
function settings.changes (path)
	local changes = {}
	for line in io.lines (path) do
		local seconds, id, value = line:match ("^([%d.]+),(%w+),([%d.]+)$")
		if id then
			local points = changes[number[id]] or {}
			if #points > 0 then points[#points + 1] = { seconds = tonumber (seconds) - 0.001, value = points[#points].value } end
			points[#points + 1] = { seconds = tonumber (seconds), value = tonumber (value) }
			changes[number[id]] = points
		end
	end
	return changes
end

return settings
