#include "search/search_hooks.h"

namespace mirvo {

constinit SearchHooks searchHooks;

}  // namespace mirvo
