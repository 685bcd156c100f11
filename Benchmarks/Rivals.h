#pragma once

namespace corvane::bench {

/// Runs the registered benchmarks and then prints each "SUBJECT/corvane" beside its rivals "SUBJECT/...": the
/// medians of the same run, and how the speed of ours compares (1.00 is equal, 0.80 a fifth slower).
int runAgainstRivals(int argc, char** argv);

}
