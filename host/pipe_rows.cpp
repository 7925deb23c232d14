#include "host/pipe_rows.h"

#include "include/vorn_contract.h"
#include "platform/named_pipe.h"
#include "transport/pipe_client.h"

std::string PipeNameOf(int row) {
    return VORN_PIPE_NAME_PREFIX + std::to_string(row);
}

int PipeRowFind() {
    for (int row = 0; row < VORN_PIPE_NAMES; ++row) {
        const vorn::PipeHolder holder = vorn::PipeHolderOf(PipeNameOf(row));
        if (holder == vorn::PipeHolder::ThisProcess || holder == vorn::PipeHolder::ThisUser) return row;
    }
    return -1;
}

bool PipeRowAsk(int row, const std::string& request, std::string& reply, std::string& fault) {
    const std::string name = PipeNameOf(row);
    if (vorn::PipeHolderOf(name) == vorn::PipeHolder::AnotherUser) {
        fault = "the pipe " + name + " is another user's";
        return false;
    }
    switch (vorn::PipeAsk(name.c_str(), request, 0, reply)) {
        case vorn::PipeAnswer::Whole:
            return true;
        case vorn::PipeAnswer::NoPipe:
            fault = "no server holds the pipe " + name;
            return false;
        case vorn::PipeAnswer::BrokeOff:
            break;
    }
    fault = "the server of the pipe " + name + " gave no whole answer";
    return false;
}
