-- Builds and saves one session in Ardour's own lua shell: build.lua TOOLS FOLDER CASE. TOOLS/CASE.set holds the effect's
-- settings and TOOLS/CASE.csv its automation; a case without the former has no effect. sounds.py then puts the sounds in.
local tools, folder, case = arg[1], arg[2], arg[3]
local settings = dofile (tools .. "/settings.lua")
local rate = 44100 -- Hz, the recording's

AudioEngine:set_backend ("None (Dummy)", "", ""):set_sample_rate (rate)
local session = create_session (folder, "session", rate)
assert (session, "no session")

-- Connected below: Ardour would do it in its own time, and undo nothing of it that this file wants otherwise.
ARDOUR.config ():set_input_auto_connect (ARDOUR.AutoConnectOption.ManualConnect)
ARDOUR.config ():set_output_auto_connect (ARDOUR.AutoConnectOption.ManualConnect)

local function connect (from, to)
	for channel = 0, 1 do from:output ():audio (channel):connect (to:input ():audio (channel):name ()) end
end

local last = ARDOUR.PresentationInfo.max_order
local midi = ARDOUR.DataType ("midi")
local guitar = session:new_audio_track (2, 2, nil, 1, "guitar", last, ARDOUR.TrackMode.Normal, true):front ()
local place = guitar -- where the effect goes

if case == "notes" then -- a track plays no notes beside its sound: a bus gets both
	place = session:new_audio_route (2, 2, nil, 1, "effect", ARDOUR.PresentationInfo.Flag.AudioBus, last):front ()
	local one = ARDOUR.ChanCount (midi, 1)
	local keys = session:new_midi_track (one, one, true, ARDOUR.PluginInfo (), nil, nil, 1, "keys", last,
		ARDOUR.TrackMode.Normal, true):front ()

	place:input ():add_port ("", nil, midi)
	connect (guitar, place)
	keys:output ():midi (0):connect (place:input ():midi (0):name ())
end

connect (place, session:master_out ())

for _, route in ipairs { guitar, place } do
	route:panner_shell ():set_bypassed (true) -- left stays left, at unity
end

if ARDOUR.LuaAPI.file_test (tools .. "/" .. case .. ".set", ARDOUR.LuaAPI.FileTest.Exists) then
	local effect = ARDOUR.LuaAPI.new_plugin (session, "Tarvelline", ARDOUR.PluginType.VST3, "")
	assert (not effect:isnil () and place:add_processor_by_index (effect, 0, nil, true) == 0, "no plug-in")

	for _, setting in ipairs (settings.values (tools .. "/" .. case .. ".set")) do
		assert (ARDOUR.LuaAPI.set_processor_param (effect, setting.parameter, setting.value))
	end

	for parameter, changes in pairs (settings.changes (tools .. "/" .. case .. ".csv")) do
		local _, points = ARDOUR.LuaAPI.plugin_automation (effect, parameter)
		for _, change in ipairs (changes) do
			points:add (Temporal.timepos_t (math.floor (change.seconds * rate + 0.5)), change.value, false, true)
		end
		effect:to_automatable ():automation_control (Evoral.Parameter (ARDOUR.AutomationType.PluginAutomation, 0, parameter), false)
			:set_automation_state (ARDOUR.AutoState.Play)
	end

	if case == "bypassed" then effect:to_insert ():enable (false) end -- the plug-in's own, which keeps its latency
end

session:save_state ("")
close_session ()
quit ()
