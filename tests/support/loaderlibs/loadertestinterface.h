#pragma once

// What the loader test libraries hand out: which library made it and its
// serial number within that library's lifetime.
struct LoaderTestInterface
{
    char tag[32];
    int serial;
};
