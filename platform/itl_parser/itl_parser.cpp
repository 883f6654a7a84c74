#include "platform/itl_parser/itl_parser.h"

ITLParser::ITLParser(const char * /*path*/) {}
