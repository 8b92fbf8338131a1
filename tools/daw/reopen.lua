-- Opens a session again in a process of its own and looks for all that build.lua and sounds.py put in: reopen.lua TOOLS
-- FOLDER CASE. Ends with an error at the first thing missing.
local tools, folder, case = arg[1], arg[2], arg[3]
local settings = dofile (tools .. "/settings.lua")

AudioEngine:set_backend ("None (Dummy)", "", ""):set_sample_rate (44100)
local session = load_session (folder, "session")
assert (session, "no session")

for track in session:get_tracks ():iter () do
	assert (track:to_track ():playlist ():n_regions () == 1, "a region is missing")
end

if ARDOUR.LuaAPI.file_test (tools .. "/" .. case .. ".set", ARDOUR.LuaAPI.FileTest.Exists) then
	local effect = session:route_by_name (case == "notes" and "effect" or "guitar"):nth_plugin (0)
	assert (not effect:isnil (), "the plug-in is missing")
	assert (effect:to_insert ():enabled () == (case ~= "bypassed"), "the bypass is not as it was")
	assert (effect:to_insert ():signal_latency () == 2048, "the latency is not the plug-in's")

	for _, setting in ipairs (settings.values (tools .. "/" .. case .. ".set")) do
		local value = ARDOUR.LuaAPI.get_processor_param (effect, setting.parameter)
		assert (math.abs (value - setting.value) < 1e-6, settings.ids[setting.parameter + 1] .. " came back as " .. value)
	end

	for parameter, changes in pairs (settings.changes (tools .. "/" .. case .. ".csv")) do
		local _, list = ARDOUR.LuaAPI.plugin_automation (effect, parameter)
		assert (list:size () == #changes, "automation is missing")
	end
end

print (case .. ": everything came back")
close_session ()
quit ()
