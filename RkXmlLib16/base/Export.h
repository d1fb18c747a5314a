#ifndef RKXMLLIB16_BASE_EXPORT_H
#define RKXMLLIB16_BASE_EXPORT_H

// Marks what crosses the boundary of the shared library; everything else is hidden.
#define RKXML_EXPORT __attribute__((visibility("default")))
// Takes back what a class nested in an exported one has from it; stands at the definition in a source.
#define RKXML_HIDDEN __attribute__((visibility("hidden")))

#endif
