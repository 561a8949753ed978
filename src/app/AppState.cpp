#include "app/AppState.h"

namespace mervola {

AppState &appState()
{
    static AppState state;
    return state;
}

}  // namespace mervola
