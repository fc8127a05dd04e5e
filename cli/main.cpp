#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    std::fputs("usage: velmo-cli COMMAND ...\n", stderr);
    return 2;
}
