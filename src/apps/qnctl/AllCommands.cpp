#include "Command.h"

#include <iterator>

namespace qnctl {

CommandTable AllCommands() {
    CommandTable all;
    for (CommandTable family :
         {PortCommands(), ConnectionCommands(), DoctorCommands(), LineCommands(), WatchCommands(),
          VerbCommands(), TravelCommands(), SyncCommands(), FileCommands(), ProgramCommands(),
          SetupCommands(), FontCommands(), ImageCommands(), TransferCommands(), KeyCommands(),
          MacroCommands(), CallCommands(), TraceCommands()})
        all.insert(all.end(), std::make_move_iterator(family.begin()),
                   std::make_move_iterator(family.end()));
    return all;
}

} // namespace qnctl
