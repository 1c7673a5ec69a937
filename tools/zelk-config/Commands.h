// Commands: the run functions of zelk-config's commands, one file each (<Name>Command.cpp), put
// in rows of the command table (Command.h).
#pragma once

namespace zelk::configtool {

struct CommandContext;

int runCheck(const CommandContext& context);
int runList(const CommandContext& context);
int runUsage(const CommandContext& context);
int runHelp(const CommandContext& context);
int runShow(const CommandContext& context);
int runValues(const CommandContext& context);
int runReadKey(const CommandContext& context);
int runSchema(const CommandContext& context);
int runCompletion(const CommandContext& context);
int runMan(const CommandContext& context);

}  // namespace zelk::configtool
