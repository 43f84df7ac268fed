#include "sources/musicxml/MusicXmlParser.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <exception>

#include "sources/musicxml/MusicXmlDocument.h"
#include "sources/musicxml/MusicXmlValues.h"

namespace tavrion {

namespace {

constexpr std::size_t bufferSize = 256UL * 1024;
constexpr std::string_view again = "; export the library again";

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

std::string describe(XML_Error code, bool isEmpty) {
    switch (code) {
        case XML_ERROR_NO_ELEMENTS:
            return isEmpty ? "the file is empty" : "the file ends too early";
        case XML_ERROR_UNCLOSED_TOKEN:
        case XML_ERROR_UNCLOSED_CDATA_SECTION:
        case XML_ERROR_PARTIAL_CHAR:
            return "the file ends too early";
        case XML_ERROR_TAG_MISMATCH:
            return "an end tag does not match its start tag";
        case XML_ERROR_INVALID_TOKEN:
        case XML_ERROR_SYNTAX:
            return "this is not XML";
        case XML_ERROR_NO_MEMORY:
            return "there is not enough memory to read on";
        default:
            return std::string("this is not sound XML (") + XML_ErrorString(code) + ")";
    }
}

}  // namespace

struct MusicXmlParser::Reader {
    std::string name;
    MusicXmlDocument document;
    std::unique_ptr<XML_ParserStruct, FreeParser> parser{XML_ParserCreate(nullptr)};
    bool isEmpty = true;
    /// The first thing wrong, as a whole line; empty while all is well.
    std::string error;

    void fail(const std::string& what) {
        if (error.empty()) {
            const auto line = parser ? XML_GetCurrentLineNumber(parser.get()) : 1;
            error = name + ", line " + std::to_string(line) + ": " + what;
        }
        if (parser) {
            XML_StopParser(parser.get(), XML_FALSE);
        }
    }

    /// Runs a step of the document; nothing may be thrown through the C code that calls us.
    template <class Step>
    static void run(void* self, Step step) {
        auto& reader = *static_cast<Reader*>(self);
        if (!reader.error.empty()) {
            return;
        }
        try {
            if (!step(reader.document)) {
                reader.fail(reader.document.problem());
            }
        } catch (const std::exception&) {
            reader.fail("there is not enough memory to read on; close other programs");
        }
    }

    static void XMLCALL start(void* self, const XML_Char* element, const XML_Char**) {
        run(self, [&](MusicXmlDocument& sink) { return sink.startElement(element); });
    }
    static void XMLCALL end(void* self, const XML_Char*) {
        run(self, [](MusicXmlDocument& sink) { return sink.endElement(); });
    }
    static void XMLCALL characters(void* self, const XML_Char* text, int length) {
        run(self, [&](MusicXmlDocument& sink) {
            return sink.characters({text, static_cast<std::size_t>(length)});
        });
    }
    static void XMLCALL doctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                int hasInternalSubset) {
        if (hasInternalSubset != 0) {
            static_cast<Reader*>(self)->fail("the file declares elements or entities of its own" +
                                             std::string(again));
        }
    }
    static void XMLCALL skippedEntity(void* self, const XML_Char* entity, int) {
        static_cast<Reader*>(self)->fail("the entity &" + musicXmlTextForPeople(entity) +
                                         "; is not known" + std::string(again));
    }

    void connect() {
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(parser.get(), start, end);
        XML_SetCharacterDataHandler(parser.get(), characters);
        XML_SetStartDoctypeDeclHandler(parser.get(), doctype);
        XML_SetSkippedEntityHandler(parser.get(), skippedEntity);
    }

    bool parse(std::size_t count, bool isLast) {
        if (!error.empty()) {
            return false;
        }
        isEmpty = isEmpty && count == 0;
        const XML_Status status = XML_ParseBuffer(parser.get(), static_cast<int>(count), isLast);
        if (status != XML_STATUS_OK && error.empty()) {
            fail(describe(XML_GetErrorCode(parser.get()), isEmpty) + std::string(again));
        }
        return error.empty();
    }
};

MusicXmlParser::MusicXmlParser(std::string name, std::size_t size)
    : reader_(std::make_unique<Reader>()) {
    reader_->name = std::move(name);
    if (!reader_->parser) {
        reader_->fail("there is not enough memory to read on; close other programs");
        return;
    }
    reader_->connect();
    reader_->document.reserve(size);
}

MusicXmlParser::~MusicXmlParser() = default;

std::span<char> MusicXmlParser::buffer() {
    if (!reader_->error.empty()) {
        return {};
    }
    void* room = XML_GetBuffer(reader_->parser.get(), static_cast<int>(bufferSize));
    if (room == nullptr) {
        reader_->fail("there is not enough memory to read on; close other programs");
        return {};
    }
    return {static_cast<char*>(room), bufferSize};
}

bool MusicXmlParser::parseBuffer(std::size_t count) {
    return reader_->parse(count, false);
}

Result<std::shared_ptr<const MediaSnapshot>> MusicXmlParser::finish() {
    if (!buffer().empty() && reader_->parse(0, true) && !reader_->document.finish()) {
        reader_->fail(reader_->document.problem());
    }
    if (!reader_->error.empty()) {
        return NSError{reader_->error, {}};
    }
    return reader_->document.takeSnapshot();
}

Result<std::shared_ptr<const MediaSnapshot>> MusicXmlParser::parse(std::string_view bytes,
                                                                   std::string name) {
    MusicXmlParser parser(std::move(name), bytes.size());
    while (!bytes.empty()) {
        const std::span<char> room = parser.buffer();
        const std::size_t count = std::min(room.size(), bytes.size());
        if (count == 0) {
            break;
        }
        std::memcpy(room.data(), bytes.data(), count);
        bytes.remove_prefix(count);
        if (!parser.parseBuffer(count)) {
            break;
        }
    }
    return parser.finish();
}

}  // namespace tavrion
