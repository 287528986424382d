#include "app/startup.h"

int main(int argc, char** argv) { return StartPrismo(argc, argv); }
