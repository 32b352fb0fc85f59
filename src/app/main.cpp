#include "app/Viewer.h"

int main(int argc, char **argv)
{
    return runViewer(argc, argv);
}
