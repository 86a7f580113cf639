#include "command.h"
#include "commands.h"

QList<const cCommand*> commandTable()
{
    return {&checkCommand(), &infoCommand()};
}
