#!/usr/bin/env bash
# Plays a script of requests against a running service: demo.sh ADDRESS. Replies that can be foretold are held
# against what is expected, so that the demo fails where the service does. In the environment: VORN_PIPE, the number of the service's
# pipe; VORN_SERIAL, the far end of its serial line; VORN_PICTURES, the folder for pictures.
set -euo pipefail

address=$1
if [ -t 1 ]; then
    bold=$'\e[1m' blue=$'\e[34m' green=$'\e[32m' yellow=$'\e[33m' plain=$'\e[0m'
else
    bold='' blue='' green='' yellow='' plain=''
fi

heading() { printf '\n%s%s%s\n' "$bold" "$*" "$plain"; }
note() { printf '%s# %s%s\n' "$yellow" "$*" "$plain"; }

# show REQUEST REPLY: shows one exchange and keeps the reply in $reply.
show() {
    reply=$2
    printf '%s> %s%s\n%s< %s%s\n' "$blue" "$1" "$plain" "$green" "$reply" "$plain"
}
# ask COMMAND NAME MESSAGES: sends one request and shows both ways; the reply stays in $reply.
ask() {
    local body="{\"command\":\"$1\",\"name\":\"$2\",\"messages\":$3}"
    show "$body" "$(curl -sS --noproxy "*" --max-time 20 "$address" -H 'Content-Type: application/json' -d "$body")"
}
# expect TEXT: the last reply begins with TEXT.
expect() {
    case "$reply" in
        "$1"*) ;;
        *)
            printf 'expected a reply that begins with: %s\n' "$1" >&2
            exit 1
            ;;
    esac
}

# await TEXT COMMAND NAME MESSAGES: asks until the reply begins with TEXT, for ten seconds at most.
await() {
    local text=$1
    shift
    for _ in {1..50}; do
        ask "$@" >/dev/null
        case "$reply" in "$text"*) break ;; esac
        sleep 0.2
    done
    ask "$@"
    expect "$text"
}

place() { # OneID name X Z
    ask AddModule "$project" "{\"VornModuleID\":$1,\"DeviceName\":\"$2\",\"PositionX\":$3,\"PositionZ\":$4}"
    expect MOD
}
node() { # X Z
    ask AddNode "$project" "{\"VornModuleID\":3000,\"NodeName\":\"FLUID\",\"PositionX\":$1,\"PositionZ\":$2}"
    expect NOD
}
link() { # from port to port
    ask AddLink "$project" "{\"Type\":0,\"F_InstanceID\":\"$1\",\"F_PortNb\":$2,\"S_InstanceID\":\"$3\",\"S_PortNb\":$4}"
}

project=DEMO

heading "A project"
ask Create "$project" '""'
expect OK

heading "A small chilled-water loop: tank, pump, heat exchanger, fan coil and two nodes"
place 2601010000014 膨胀水箱 0.0 0.0   # MOD0
place 2601010000011 水泵 4.0 0.0       # MOD1
place 2601010000013 板式换热器 8.0 0.0 # MOD2
place 25092117291321127 风机盘管 8.0 6.0   # MOD3
node 2.0 0.0                               # NOD0
node 2.0 6.0                               # NOD1

heading "Links"
note "the tank's end port and a node, neither flagged: a pipe module is put between them"
link MOD0 1 NOD0 0
expect 'OK,但是新增了一个模块、链接了两条线:'
note "through ports are linked directly; the node's port is chosen by the service"
link NOD0 0 MOD1 0
expect LNK
link MOD1 1 MOD2 0
expect LNK
link MOD2 1 MOD3 0
expect LNK
link MOD3 1 NOD1 0
expect LNK
note "back to the first node, again with a pipe between two nodes"
link NOD1 0 NOD0 0
expect 'OK,但是新增了一个模块、链接了两条线:'

heading "Three instructive mistakes"
note "a fan coil's inlet is no upstream port"
link MOD3 0 NOD0 0
expect '连线错误,上游端口只能是出口性质'
note "the name must fit the type's identity"
ask AddModule "$project" '{"VornModuleID":2601010000011,"DeviceName":"阀门"}'
expect 'DeviceName与VornModuleID对应不上,请重新核查'
note "names of projects are letters and digits"
ask Create 'my-plant' '""'
expect '项目名称仅支持英文字母与数字'

heading "Are the networks complete?"
note "a node of its own is a net that nothing keeps under pressure"
node 6.0 9.0 # NOD2
ask NetAccess "$project" '""'
expect '出错啦,此节点(InstanceID)所在管网缺少定压装置:NOD2'
note "a pipe joins it to the net of the tank"
link NOD1 0 NOD2 0
expect 'OK,但是新增了一个模块、链接了两条线:'
ask NetAccess "$project" '""'
expect OK
note "the topology as JSON, of which these are the first lines and the first branch"
ask PjtInfoChk "$project" '""' >/dev/null
expect '{'
printf '%s\n' "$reply" | sed -n -e '1,11p' -e '/"BranchNb"/,/"PostPort"/p'

heading "A whole cold store from one document, and the same with a pipe forgotten"
examples=$(dirname "$0")/../examples
# plant FILE VERDICT: replaces the project by a document, which is not shown, and has its networks analysed.
plant() {
    show "{\"command\":\"PjtSent\",\"name\":\"$project\",\"messages\":$1 ...}" "$({
        printf '{"command":"PjtSent","name":"%s","messages":' "$project"
        cat "$examples/$1"
        printf '}'
    } | curl -sS --noproxy "*" --max-time 20 "$address" -H 'Content-Type: application/json' --data-binary @-)"
    expect OK
    ask NetAccess "$project" '""'
    expect "$2"
}
plant cold_store_faulty.json '出错啦,此支路号:2不完整,缺少下游链接'
plant cold_store.json OK
note "length, elbows and the diameter that came with the fitting"
ask VarCacheGet "${project}_liquid line to expansion valve 1" '""'
expect '[{"Row":0,"Item":"PL"'

# values FILE: what a run is to begin with, into cache set 0.
values() {
    local element row value
    while IFS='|' read -r element row value; do
        ask VarCacheSet "${project}_$element" "{\"Row\":$row,\"Column\":1,\"Value\":\"$value\"}" >/dev/null
        expect OK
    done <"$examples/$1"
}

heading "The plant runs"
note "what its devices are: $(wc -l <"$examples/cold_store.values") values of cold_store.values into cache set 0, as this one"
values cold_store.values
ask VarCacheSet "${project}_cold room" '{"Row":0,"Column":1,"Value":"-2"}'
expect OK
ask PjtRun "$project" '""'
expect OK
live="{\"VarName\":[\"${project}_GStep\",\"${project}_GTemp\",\"${project}_COP\",\"${project}_WAll\",\"${project}_GSeries\"]}"
note "two batches, half a second apart: the values live"
ask Get json "$live"
expect '["'
sleep 0.5
ask Get json "$live"
expect '["'
note "the brine that its pump drives, in kg/s; the room that it cools, twice"
await 1. FlowGet "${project}_brine pump" '""'
ask RoomGet "${project}_packing room" '""'
expect '{"InsideTemperature":"2'
sleep 1
ask RoomGet "${project}_packing room" '""'
expect '{"InsideTemperature":"23.'
note "an expansion valve closes: its cooler gets no more refrigerant, its neighbour takes over and evaporates colder"
ask FlowGet "${project}_air cooler 2" '""'
expect 0.0
ask RunValueSet "${project}_expansion valve 1" '{"Row":0,"Value":"0"}'
expect OK
await 0.000000 FlowGet "${project}_air cooler 1" '""'
ask FlowGet "${project}_air cooler 2" '""'
expect 0.0
ask Get "${project}_GTemp" '""'
expect -
note "pause; one step; stop"
ask PjtPause "$project" '""'
expect OK
ask PjtStep "$project" '""'
expect OK
ask Get "${project}_GStep" '""'
ask PjtStop "$project" '""'
expect OK
note "the room's values as they run, kept in cache set 1, changed, and brought back"
ask RunToCache "${project}_packing room" '"1"'
expect OK
ask RunValueSet "${project}_packing room" '{"Row":0,"Value":"21.5"}'
expect OK
ask RoomGet "${project}_packing room" '""'
expect '{"InsideTemperature":"21.500000"'
ask CacheToRun "${project}_packing room" '"1"'
expect OK
ask RoomGet "${project}_packing room" '""'
expect '{"InsideTemperature":"23.'
note "one element moved, one deleted"
ask MoveMN "${project}_evaporator" '{"PositionX":23.0,"PositionZ":18.5}'
expect OK
ask DeleteMNL "${project}_packing room" '""'
expect OK
ask RoomGet "${project}_packing room" '""'
expect '无法识别name中的InstanceID或ConnectionID，请核对一下'

heading "One request over each of the three ways in"
ask Get "${project}_GTemp" '""'
expect -
temperature=$reply
if [ -n "${VORN_PIPE:-}" ]; then
    note "over the pipe VornServerPipe$VORN_PIPE, by socat"
    show "Get/${project}_GTemp" "$(printf 'Get/%s_GTemp' "$project" | socat - "ABSTRACT-CONNECT:VornServerPipe$VORN_PIPE")"
    expect "$temperature"
else
    note "not over the pipe: another server of this directory holds it, with projects of its own"
fi
if [ -n "${VORN_SERIAL:-}" ]; then
    note "over a serial line, here a pair of pseudo-terminals"
    exec 3<>"$VORN_SERIAL"
    printf 'Get/%s_GTemp\r' "$project" >&3
    read -r -t 5 line <&3 || true
    show "Get/${project}_GTemp" "${line%$'\r'}"
    exec 3>&-
    expect "$temperature"
fi

heading "Pictures"
folder=${VORN_PICTURES:-.}
for drawing in PjtPngGet PjtChartGet; do
    ask $drawing "$project" '""' >/dev/null
    expect '<'
    printf '%s\n' "$reply" >"$folder/$drawing.svg"
    note "$drawing: $folder/$drawing.svg, to be opened in a browser"
done

heading "The example plants, each under its script, a minute in a second, to be looked at in the console"
# script FILE: hands the project the script that runs it.
script() {
    local text
    text=$(sed -e 's/\\/\\\\/g' -e 's/"/\\"/g' -e 's/$/\\n/' "$examples/$1" | tr -d '\n')
    note "the script $1"
    ask LuaSent "$project" "\"$text\"" >/dev/null
    expect OK
}
for example in CHILL=chilled_water_plant AIR=air_handling_system COLD=cold_store; do
    project=${example%%=*}
    ask Create "$project" '""'
    expect OK
    plant "${example#*=}.json" OK
    values "${example#*=}.values"
    script "${example#*=}.lua"
    ask Set "${project}_GRate" 60
    expect OK
    ask PjtRun "$project" '""'
    expect OK
done
note "an hour of the cold store has passed in a minute; its script runs, and these are its alarms"
await 1 Get COLD_GScript '""'
ask Get COLD_GAlarms '""'
