// What Corvane takes for Node: a program that starts quickly.

#include "Engine.h"

int main(int argc, char** argv)
{
    return corvane::torture::runEngine(QString::fromLocal8Bit(argv[argc - 1]));
}
