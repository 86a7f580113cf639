#ifndef VOSK_CLI_COMMANDS_H
#define VOSK_CLI_COMMANDS_H

class cCommand;

// One subcommand each, defined in a file of its own.
const cCommand& checkCommand();
const cCommand& infoCommand();

#endif
