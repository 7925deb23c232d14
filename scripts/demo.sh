#!/usr/bin/env bash
# Plays a script of requests against a running service: demo.sh ADDRESS. Each reply is held against the expected
# one, so that the demo fails where the service does.
set -euo pipefail

address=$1
if [ -t 1 ]; then
    bold=$'\e[1m' blue=$'\e[34m' green=$'\e[32m' yellow=$'\e[33m' plain=$'\e[0m'
else
    bold='' blue='' green='' yellow='' plain=''
fi

heading() { printf '\n%s%s%s\n' "$bold" "$*" "$plain"; }
note() { printf '%s# %s%s\n' "$yellow" "$*" "$plain"; }

# ask COMMAND NAME MESSAGES: sends one request and shows both ways; the reply stays in $reply.
ask() {
    local body="{\"command\":\"$1\",\"name\":\"$2\",\"messages\":$3}"
    printf '%s> %s%s\n' "$blue" "$body" "$plain"
    reply=$(curl -sS --max-time 20 "$address" -H 'Content-Type: application/json' -d "$body")
    printf '%s< %s%s\n' "$green" "$reply" "$plain"
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

project=DEMO$RANDOM

heading "A project"
ask Create "$project" '""'
expect OK

heading "A small chilled-water loop: tank, pump, heat exchanger, fan coil and two nodes"
place 26010100000000014 膨胀水箱 0.0 0.0   # MOD0
place 26010100000000011 水泵 4.0 0.0       # MOD1
place 26010100000000013 板式换热器 8.0 0.0 # MOD2
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
ask AddModule "$project" '{"VornModuleID":26010100000000011,"DeviceName":"阀门"}'
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
    printf '%s> {"command":"PjtSent","name":"%s","messages":%s ...}%s\n' "$blue" "$project" "$1" "$plain"
    reply=$({
        printf '{"command":"PjtSent","name":"%s","messages":' "$project"
        cat "$examples/$1"
        printf '}'
    } | curl -sS --max-time 20 "$address" -H 'Content-Type: application/json' --data-binary @-)
    printf '%s< %s%s\n' "$green" "$reply" "$plain"
    expect OK
    ask NetAccess "$project" '""'
    expect "$2"
}
plant cold_store_faulty.json '出错啦,此支路号:2不完整,缺少下游链接'
plant cold_store.json OK
note "length, elbows and the diameter that came with the fitting"
ask VarCacheGet "${project}_liquid line to expansion valve 1" '""'
expect '[{"Row":0,"Item":"PL"'
