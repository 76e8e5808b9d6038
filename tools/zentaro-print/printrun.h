#pragma once

// One print run: renders the request named on the command line into the
// output file. Diagnostics go to standard output; there is no failure status.
void compile(int argc, char** argv);
