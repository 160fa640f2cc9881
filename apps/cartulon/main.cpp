#include "gui/Start.h"

int main(int argc, char** argv) { return ct::Start::Main(argc, argv); }
