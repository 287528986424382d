#pragma once

// Brings the application up, runs its event loop, takes everything down in reverse order, and returns the loop's
// result. argc and argv are the program's own; only the toolkit reads them.
int StartPrismo(int& argc, char** argv);
