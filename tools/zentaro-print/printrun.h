#pragma once

// One print run: renders the request named on the command line into the
// output file. By default diagnostics go to standard output and the status
// is 0 whatever happened; options before the file names ask for more.
// Answers the exit status.
int compile(int argc, char** argv);
