/* What clients of VornServer rely on, once for the service, its host programs and everybody else. For C and
 * C++. */

#ifndef VORN_CONTRACT_H
#define VORN_CONTRACT_H

enum {
    /* The service answers HTTP on the first of these ports that is free. */
    VORN_FIRST_PORT = 33360,
    VORN_LAST_PORT = 33459,

    /* Pipe names that the servers of one machine share: the prefix with a number, 0 to 99, behind it. */
    VORN_PIPE_NAMES = 100,
    /* The pipe carries requests and replies in chunks of this size. A read that gives a client fewer bytes
     * is the last one of its reply. */
    VORN_PIPE_CHUNK_BYTES = 256,

    /* Room for the reply to one serial line, with its terminator. */
    VORN_SERIAL_REPLY_BYTES = 192
};

#define VORN_PIPE_NAME_PREFIX "VornServerPipe"

#endif
