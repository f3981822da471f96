// Writes pages to look at into a folder: sample_pages FOLDER.

#include "GeneratedRun.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/ResultFolder.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "sample_pages FOLDER\n";
        return EXIT_FAILURE;
    }
    lab::ResultFolder folder(argv[1]);
    const lab::RunResult year = lab::samples::generatedRun(25'000, 420, 0);
    folder.add("year.html", lab::reportPage(year, lab::figuresOf(year), {"moving_average.js", {}}));
    const lab::RunResult small = lab::samples::smallRun();
    folder.add("small.html", lab::reportPage(small, lab::figuresOf(small), {"moving_average.js", {}}));
    const lab::RunResult nothing;
    folder.add("nothing.html", lab::reportPage(nothing, lab::figuresOf(nothing), {"nothing.js", {}}));
    folder.commit();
    return EXIT_SUCCESS;
}
