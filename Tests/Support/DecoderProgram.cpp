#include "Platform/Linux/Decode/DecodeChild.h"

/// The decoding child process, without the rest of the program.
int main()
{
    return corvane::runDecodeChild();
}
