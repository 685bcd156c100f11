// Stands in for Node when Corvane starts an engine; starts faster.

#include "Engine.h"

int main(int argc, char** argv)
{
    return corvane::torture::runEngine(QString::fromLocal8Bit(argv[argc - 1]));
}
