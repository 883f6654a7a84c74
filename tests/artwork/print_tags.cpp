// What TagLib says of an mp3 file, a line "key=value" for each thing that it knows; the first picture goes to
// a file of its own. Usage: print_tags MP3 PICTURE

#include <taglib/attachedpictureframe.h>
#include <taglib/audioproperties.h>
#include <taglib/fileref.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/tag.h>

#include <fstream>
#include <iostream>
#include <string>

namespace {

void PrintText(const char *key, const TagLib::String &text) {
    if (!text.isEmpty()) std::cout << key << '=' << text.toCString(true) << '\n';
}

void PrintNumber(const char *key, int number) {
    if (number != 0) std::cout << key << '=' << number << '\n';
}

void PrintTag(const TagLib::Tag *tag) {
    if (tag == nullptr || tag->isEmpty()) return;
    PrintText("name", tag->title());
    PrintText("artist", tag->artist());
    PrintText("album", tag->album());
    PrintText("comments", tag->comment());
    PrintText("genre", tag->genre());
    PrintNumber("year", static_cast<int>(tag->year()));
    PrintNumber("track", static_cast<int>(tag->track()));
}

void WritePicture(TagLib::File *file, const char *path) {
    const TagLib::ID3v2::Tag tag(file, 0, TagLib::ID3v2::FrameFactory::instance());
    for (const TagLib::ID3v2::Frame *frame : tag.frameList()) {
        if (frame->frameID() != "APIC") continue;
        const auto *attached = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame *>(frame);
        if (attached == nullptr || attached->picture().isEmpty()) continue;
        const TagLib::ByteVector picture = attached->picture();
        std::ofstream(path, std::ios::binary).write(picture.data(), picture.size());
        std::cout << "media_has_thumb=true\n";
        return;
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) return 2;
    const TagLib::FileRef file(argv[1], true, TagLib::AudioProperties::Average);
    if (file.isNull()) return 0;
    PrintTag(file.tag());
    if (file.audioProperties() != nullptr) PrintNumber("duration", file.audioProperties()->length() * 1000);
    WritePicture(file.file(), argv[2]);
    return 0;
}
