#include "Platform/Linux/Decode/DecodeChild.h"

/// The child that decodes, without the rest of the program.
int main()
{
    return corvane::runDecodeChild();
}
