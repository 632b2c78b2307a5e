-- SPDX-License-Identifier: GPL-3.0-or-later
-- What Ardour is asked to do, run by ardour7-lua with the dummy audio back end: ardour.lua COMMAND FOLDER NAME FORMAT
--
--   build   a new session with the tracks below, their settings and an automation, saved without any audio
--   reopen  loads, tells every parameter of every instance, plays, and saves
--   bypass  loads, switches every instance off as Ardour's button does, and saves
--   probe   a new session with one instance, whose latency and programs it tells
--
-- Each finding is a line of words with tabs between them, the first being "found", for ardour.py to read.

local command, folder, name, format = arg[1], arg[2], arg[3], arg[4]

local pluginName = "Tarvik 41 Channel"
local sampleRate = 48000
local outputs = 2
local programWaitSeconds = 0.7 -- a program that comes within 500 ms of a loaded state is dropped
local connectSeconds = 1 -- a thread of Ardour's connects new tracks to the master bus
local playSeconds = 19
local samplesPerAutomationStep = 4800

-- Parameters by their names, as shares of their range; a program, where there is one, comes first.
local tracks =
{
    { name = "mono", channels = 1, strict = false, set = { ["Gain"] = 0.3, ["High Gain"] = 0.7, ["Comp Threshold"] = 0.5 } },
    { name = "strict", channels = 1, strict = true, set = { ["Gain"] = 0.3, ["High Gain"] = 0.7, ["Comp Threshold"] = 0.5 } },
    { name = "stereo", channels = 2, strict = false, program = "Drum Buss 1", set = { ["TOL Link"] = 0 } },
    { name = "automated", channels = 1, strict = false, set = {}, automate = { parameter = "Gain", from = 0.2, to = 0.4 } },
    { name = "keyed", channels = 1, strict = false, keyedBy = "key",
      set = { ["Exp Mode"] = 1, ["Exp External Side Chain"] = 1, ["Comp Ratio"] = 0 } },
    { name = "strictkeyed", channels = 1, strict = true, keyedBy = "key",
      set = { ["Exp Mode"] = 1, ["Exp External Side Chain"] = 1, ["Comp Ratio"] = 0 } },
    { name = "key", channels = 1, strict = false, plain = true, unheard = true },
    { name = "dry", channels = 2, strict = false, plain = true },
}

local function found (...)
    print (table.concat ({ "found", ... }, "\t"))
end

local function uniqueId()
    for info in ARDOUR.LuaAPI.list_plugins():iter() do
        if info.name == pluginName and info.type == ARDOUR.PluginType[format] then
            return info.unique_id
        end
    end
    error ("Ardour does not list " .. pluginName .. " as " .. format)
end

local function newInstance (session)
    local processor = ARDOUR.LuaAPI.new_plugin (session, uniqueId(), ARDOUR.PluginType[format], "")
    assert (not processor:isnil(), "Ardour could not make an instance")
    return processor
end

-- The controls of the parameters, by the parameters' names, and the names in their order. Those of LV2 are properties and
-- no ports, so that this is the one way to them that holds for both formats.
local function controlsOf (processor)
    local automatable, byName, names = processor:to_automatable(), {}, {}

    for parameter in automatable:all_automatable_params():iter() do
        local control = automatable:automation_control (parameter, true)
        if control:name() ~= "hidden" then
            local label = control:desc().label
            byName[label] = control
            names[#names + 1] = label
        end
    end
    return byName, names
end

local function plain (control, share)
    return control:lower() + share * (control:upper() - control:lower())
end

local function tellInstance (track, processor)
    local insert = processor:to_insert()
    found ("instance", track, "in", insert:input_streams():n_audio(), "out", insert:output_streams():n_audio(),
           "latency", insert:signal_latency(), "sidechain", tostring (insert:has_sidechain()))

    local byName, names = controlsOf (processor)
    for _, label in ipairs (names) do
        found ("parameter", track, label, string.format ("%.9g", byName[label]:get_value()))
    end
end

local function loadProgram (processor, label)
    local plugin = processor:to_insert():plugin (0)
    local preset = plugin:preset_by_label (label)
    found ("program", label, tostring (preset.valid))
    sleep (programWaitSeconds)
    if preset.valid then
        plugin:load_preset (preset)
        sleep (programWaitSeconds)
    end
end

local function automate (processor, automation)
    local control = assert (controlsOf (processor)[automation.parameter])
    local points = control:alist():list()
    local from, to = plain (control, automation.from), plain (control, automation.to)

    -- One second as it was, a slope of one second, and level again.
    for step = 0, 10 do
        points:add (Temporal.timepos_t (sampleRate + step * samplesPerAutomationStep), from + (to - from) * step / 10, false, true)
    end
    points:add (Temporal.timepos_t (0), from, false, true)
    control:set_automation_state (ARDOUR.AutoState.Play)
end

local function keyBy (session, keyTrack, processor)
    local send = ARDOUR.LuaAPI.new_send (session, keyTrack, keyTrack:amp())
    local from, to = send:to_send():output(), processor:to_insert():sidechain_input()
    for port = 0, to:n_ports():n_audio() - 1 do
        from:nth (0):connect (to:nth (port):name())
    end
    found ("key", keyTrack:name(), "ports", to:n_ports():n_audio())
end

local function build()
    local session = assert (create_session (folder, name, sampleRate))
    local routes = {}

    for _, track in ipairs (tracks) do
        local route = session:new_audio_track (track.channels, outputs, nil, 1, track.name, ARDOUR.PresentationInfo.max_order,
                                               ARDOUR.TrackMode.Normal, true):front()
        route:set_strict_io (track.strict)
        routes[track.name] = route
    end

    sleep (connectSeconds)

    for _, track in ipairs (tracks) do
        local route = routes[track.name]

        if not track.plain then
            local processor = newInstance (session)
            assert (route:add_processor_by_index (processor, 0, nil, true) == 0, "Ardour refused it on the track " .. track.name)

            if track.program then
                loadProgram (processor, track.program)
            end

            local byName = controlsOf (processor)
            for label, share in pairs (track.set) do
                local control = assert (byName[label], "no parameter " .. label)
                control:set_value (plain (control, share), PBD.GroupControlDisposition.NoGroup)
            end

            if track.automate then
                automate (processor, track.automate)
            end

            if track.keyedBy then
                assert (route:add_sidechain (processor), "Ardour refused a side chain")
                keyBy (session, routes[track.keyedBy], processor)
            end

            sleep (programWaitSeconds)
            tellInstance (track.name, processor)
        end

        if track.unheard then
            route:output():disconnect_all (nil)
        end
    end

    sleep (connectSeconds)
    session:save_state ("")
end

local function eachInstance (session, action)
    for route in session:get_tracks():iter() do
        local processor = route:nth_plugin (0)
        if not processor:isnil() then
            action (route, processor)
        end
    end
end

local function reopen()
    local session = assert (load_session (folder, name))
    eachInstance (session, function (route, processor) tellInstance (route:name(), processor) end)

    -- The meters after the fader, while the transport rolls in real time.
    session:request_locate (0, false, ARDOUR.LocateTransportDisposition.MustStop, ARDOUR.TransportRequestSource.TRS_UI)
    sleep (1)
    session:request_roll (ARDOUR.TransportRequestSource.TRS_UI)

    local loudest = {}
    for _ = 1, playSeconds * 20 do
        sleep (0.05)
        for route in session:get_tracks():iter() do
            local level = route:peak_meter():meter_level (0, ARDOUR.MeterType.MeterPeak)
            loudest[route:name()] = math.max (loudest[route:name()] or -200, level)
        end
    end

    found ("played to", session:transport_sample())
    session:request_stop (false, false, ARDOUR.TransportRequestSource.TRS_UI)
    for track, level in pairs (loudest) do
        found ("meter", track, string.format ("%.2f", level))
    end

    sleep (1)
    session:save_state ("")
end

local function bypass()
    local session = assert (load_session (folder, name))
    eachInstance (session, function (_, processor) processor:to_insert():enable (false) end)
    sleep (1)
    eachInstance (session, function (route, processor)
        found ("instance", route:name(), "latency", processor:to_insert():signal_latency(),
               "on", tostring (processor:to_insert():enabled()))
    end)
    session:save_state ("")
end

local function probe()
    local session = assert (create_session (folder, name, sampleRate))
    local processor = newInstance (session)
    local route = session:new_audio_track (1, outputs, nil, 1, "probe", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal,
                                           true):front()
    route:add_processor_by_index (processor, 0, nil, true)
    sleep (programWaitSeconds)
    found ("latency", processor:to_insert():signal_latency())
    session:save_state ("")
end

({ build = build, reopen = reopen, bypass = bypass, probe = probe })[command]()
found ("done")
