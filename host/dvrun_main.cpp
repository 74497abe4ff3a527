// dvrun: runs test scripts that call the library's commands.
#include "host/cli.h"

int main(int argc, char** argv) { return dv::host::RunDvrun(argc, argv); }
