#ifndef OMBRIX_API_SEARCHOBJECTS_H
#define OMBRIX_API_SEARCHOBJECTS_H

namespace ombrix {

/// The search objects that a solver owns, complete enough to be destroyed.
struct Worker {};
class Parallelizer {};

}  // namespace ombrix

#endif
