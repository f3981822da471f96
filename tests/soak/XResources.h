#pragma once

/// What the X server keeps for this process.
struct XResources {
    int windows = 0;
    int pixmaps = 0;
    int all = 0; ///< of every kind, cursors, pictures and graphics contexts among them

    /// Zeros without an X server, or where this program was built without the library that asks it.
    [[nodiscard]] static XResources ofThisProcess();
};
