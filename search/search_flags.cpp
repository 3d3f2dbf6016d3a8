#include "search/search_flags.h"

namespace mirvo {

constinit SearchFlags searchFlags;

}  // namespace mirvo
