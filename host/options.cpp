#include "host/options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "host/add_options.h"
#include "host/host_error.h"
#include "host/library_session.h"

namespace velmarhost {
namespace {

constexpr const char *kDescription =
    "Browses an iTunes library on disk, gets files out of it and adds files to it. Only add changes "
    "anything.";

constexpr const char *kFooter =
    R"(Paths are names joined by "/", as tree and ls show them; no PATH is the root of the tree.

Examples:
  velmarhost tree --depth 2
  velmarhost ls -l library/music
  velmarhost thumb library/music/1234.mp3 --png -o cover.png
  velmarhost get library/music --to ~/Music --with-artwork
  velmarhost --library old/iTunes/iTunes\ Library.xml --media old/iTunes/iTunes\ Media \
             get playlist/Favourites --to .
  velmarhost add ~/Downloads/album --dry-run

Results go to standard output, everything else to standard error. NO_COLOR and TERM=dumb are respected.

Exit codes:
  0  all was done
  1  some of it could not be done; standard error tells what, or for add its receipts
  2  the command line is wrong
  3  the library could not be opened
  4  no such path in the library
  5  the driver module could not be loaded
A run that a signal ends has 128 and the signal's number, such as 130 after Ctrl-C.)";

constexpr const char *kJsonHelp = "Write JSON: see \"JSON\" in velmarhost stat --help";

constexpr const char *kStatFooter =
    R"(JSON: tree and ls write an array with one object for each entry, stat writes one object. An object has
  path, name          texts
  depth               levels below PATH
  reachable           whether the path leads to the entry; if not, "problem" says why, and what follows is missing
  type                a word, such as "music" or "playlist"
  has_thumbnail       whether the driver knows of a picture, which velmarhost thumb gives
  kind, category, subcategory   the driver's numbers
  attributes          an object of texts
  children            stat only: the names below the node
Bytes that are no UTF-8 appear as U+FFFD.)";

constexpr const char *kGetFooter =
    R"(A folder of the tree becomes a folder in DIR. A file that is there already stays as it is, so the same command goes on
where an earlier one stopped. Each file is written under a name ".velmarhost-*.part" first and renamed when it is
complete.

With --with-artwork every file that has a picture gets the largest one beside it, under its own name with the picture's
extension, such as .jpg or .png. A picture that cannot be read is counted and is no failure.)";

constexpr const char *kThumbFooter =
    R"(PATH is that of a file, such as library/music/1234.mp3, of its "thumb", or of one thumbnail below that. ls -l marks
files that have a picture.

A picture comes as it is: a PNG or JPEG file, or raw pixels without any header, which few programs can show. --png makes
a PNG of raw pixels and leaves a PNG alone; a JPEG it refuses. A file that is there already is replaced.)";

constexpr const char *kAddFooter =
    R"(A FILE is a file, a folder with all that lies in it, or - for standard input, which needs --name. Files are copied into
the folder "Automatically Add to iTunes" of the media folder, from where iTunes takes them at its next look. In folders,
hidden files and files of kinds that iTunes does not take are passed over and counted.
iTunes takes: mp3 m4a aac wav, m4r, mp4 m4v mp4v mov mpg mpeg mpeg4, pdf epub, ipa.

Every file gets a receipt: one line, or with --json one object. It tells the name that the file got, which has a number
where the name was taken, and where it shows in the tree, or else why it was not added. Nothing is written for a file that
could not be added whole. Ctrl-C stops the copies in the same way: the receipts tell how far they came.

A library opened with --library needs --media DIR as well, and DIR the folder "Automatically Add to iTunes".

JSON: an array with one object for each file, in the order of the copies:
  source    the file, as it was named
  result    "added", "would-add" (with --dry-run), "failed" or "interrupted"
  name      the name that it got, or with --dry-run asks for; null where nothing tells it
  path      where it shows in the tree; null where it does not
  location  the file behind that path
  bytes     its size; 0 where unknown
  problem   why it was not added; missing for what was)";

void AddGlobalOptions(CLI::App &app, Options &options) {
    app.add_option("--library", options.library.library,
                   "Open this library file (XML, or .itl) instead of the user's own library")
        ->type_name("FILE");
    app.add_option("--media", options.library.media,
                   "Where the media folder of the library is now; needs --library")
        ->type_name("DIR");
    app.add_option(
           "--drive", options.library.drives,
           "Where a Windows drive of the library is now, such as C:=/mnt/old; may be given several times")
        ->type_name("LETTER=DIR")
        ->expected(1)
        ->take_all();
    app.add_option("--driver", options.driver, "Load this driver module")->type_name("FILE")->take_last();
    app.add_flag("-v,--verbose", options.verbose,
                 "Show the driver's log, and every file that was not got or added");
    const std::map<std::string, ColorChoice> choices = {
        {"auto", ColorChoice::kAuto}, {"always", ColorChoice::kAlways}, {"never", ColorChoice::kNever}};
    app.add_option("--color", options.color, "auto, always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(choices).description(""));
}

CLI::App *AddCommand(CLI::App &app, Options &options, Command command, const std::string &name,
                     const std::string &help) {
    CLI::App *subcommand = app.add_subcommand(name, help);
    // Options of the program may stand behind the command as well.
    subcommand->fallthrough();
    subcommand->final_callback([&options, command] { options.command = command; });
    return subcommand;
}

void AddPath(CLI::App *command, Options &options, bool required) {
    command->add_option("path", options.paths, "Path in the tree")
        ->type_name("PATH")
        ->expected(1)
        ->required(required);
}

void AddTree(CLI::App &app, Options &options) {
    CLI::App *tree = AddCommand(app, options, Command::kTree, "tree", "Show a part of the tree");
    AddPath(tree, options, false);
    tree->add_option("--depth", options.depth, "Levels to show below PATH")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    tree->add_flag("-a,--all", options.all, "Show what lies below files too: their thumbnails");
    tree->add_flag("--json", options.json, kJsonHelp);
}

void AddLs(CLI::App &app, Options &options) {
    CLI::App *ls = AddCommand(app, options, Command::kLs, "ls", "List the children of a node");
    AddPath(ls, options, false);
    ls->add_flag("-l,--long", options.long_list,
                 "Columns: type, size, date, mark, name, title. The mark * stands at what has a picture");
    ls->add_flag("--human", options.human_sizes, "With -l: sizes as 1.2 MB");
    ls->add_flag("--json", options.json, kJsonHelp);
}

void AddStat(CLI::App &app, Options &options) {
    CLI::App *stat = AddCommand(app, options, Command::kStat, "stat", "Show all that is known of one node");
    AddPath(stat, options, true);
    stat->add_flag("--json", options.json, "Write JSON");
    stat->footer(kStatFooter);
}

void AddCat(CLI::App &app, Options &options) {
    CLI::App *cat =
        AddCommand(app, options, Command::kCat, "cat", "Write the bytes of a file to standard output");
    AddPath(cat, options, true);
    cat->add_option("--offset", options.offset, "Bytes to pass over")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    cat->add_option("--length", options.length, "Bytes to write at most")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
}

void AddThumb(CLI::App &app, Options &options) {
    CLI::App *thumb =
        AddCommand(app, options, Command::kThumb, "thumb", "Write the picture of a file: cover or icon");
    AddPath(thumb, options, true);
    thumb->add_option("-o,--output", options.file, "File to write; - is standard output")
        ->type_name("FILE")
        ->required();
    const std::map<std::string, ThumbnailSize> sizes = {{"small", ThumbnailSize::kSmall},
                                                        {"middle", ThumbnailSize::kMiddle},
                                                        {"large", ThumbnailSize::kLarge}};
    thumb->add_option("--size", options.thumbnail_size, "small, middle or large; the largest without it")
        ->type_name("SIZE")
        ->transform(CLI::CheckedTransformer(sizes).description(""));
    thumb->add_flag("--png", options.png, "Make a PNG of raw pixels");
    thumb->footer(kThumbFooter);
}

void AddGet(CLI::App &app, Options &options) {
    CLI::App *get =
        AddCommand(app, options, Command::kGet, "get", "Copy files and whole folders of the tree to disk");
    get->add_option("path", options.paths, "Paths in the tree")->type_name("PATH")->required();
    get->add_option("--to", options.target, "Folder to write to; made if it is not there")
        ->type_name("DIR")
        ->required();
    const std::map<std::string, FileNames> names = {{"title", FileNames::kTitle}, {"path", FileNames::kPath}};
    get->add_option("--names", options.names, "title: \"Artist - Title.mp3\"; path: the names in the tree")
        ->type_name("HOW")
        ->transform(CLI::CheckedTransformer(names).description(""));
    get->add_flag("--overwrite", options.overwrite, "Write files again that are there already");
    get->add_flag("--with-artwork", options.with_artwork, "Put the picture of each file beside it");
    get->footer(kGetFooter);
}

void AddAdd(CLI::App &app, Options &options) {
    CLI::App *add =
        AddCommand(app, options, Command::kAdd, "add", "Copy files and whole folders into iTunes");
    add->add_option("file", options.paths, "Files and folders; - is standard input")
        ->type_name("FILE")
        ->required();
    add->add_option("--to", options.add_to,
                    "The path to tell the driver; without it the place of each file's kind")
        ->type_name("PATH");
    add->add_option("--name", options.add_name, "The name to give to a single FILE, with its extension")
        ->type_name("NAME");
    add->add_flag("--dry-run", options.dry_run, "Only tell what would be added");
    add->add_flag("--json", options.json, "Write the receipts as JSON");
    add->footer(kAddFooter);
}

void CheckCombination(Options &options) {
    if (!options.library.media.empty() && options.library.library.empty()) {
        throw HostError(ExitCode::kUsage,
                        "--media tells where the media of a library file are now. Name that file with "
                        "--library FILE.");
    }
    if (options.command == Command::kAdd) return CompleteAddOptions(options);
    if (options.paths.empty()) options.paths.emplace_back();
    for (std::string &path : options.paths)
        path = CleanPath(path);
}

}  // namespace

std::optional<Options> ParseOptions(int argument_count, char **arguments) {
    Options options;
    CLI::App app(kDescription, "velmarhost");
    app.footer(kFooter);
    app.set_version_flag("--version", "velmarhost " VELMARHOST_VERSION);
    app.require_subcommand(1);
    AddGlobalOptions(app, options);
    AddTree(app, options);
    AddLs(app, options);
    AddStat(app, options);
    AddCat(app, options);
    AddThumb(app, options);
    AddGet(app, options);
    AddAdd(app, options);
    try {
        app.parse(argument_count, arguments);
    } catch (const CLI::Success &answer) {
        app.exit(answer, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError &error) {
        throw HostError(ExitCode::kUsage, std::string(error.what()) + ". See velmarhost --help");
    }
    CheckCombination(options);
    return options;
}

}  // namespace velmarhost
