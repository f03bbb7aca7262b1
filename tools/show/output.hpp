// Standard output in one of its forms.
#pragma once

#include "show/json_array.hpp"
#include "show/show.hpp"
#include "show/table.hpp"

#include <ostream>

namespace tool {

class Output {
  public:
    Output(Format format, std::ostream &out) : format_(format), out_(out), json_(out) {}

    void add(const Certificate &certificate);
    void add(const Crl &crl);
    void add(const Request &request);
    void add(const Message &message);
    void add(const OcspRequest &request);
    void add(const OcspResponse &response);

    // What comes behind all objects. `num_failed` of them are not among those added.
    void finish(size_t num_failed);

  private:
    std::ostream &next_page();

    // Of kinds that are shown in one piece.
    template <class Object, class Text, class ToJson>
    void add_whole(const Object &object, const Text &text, const ToJson &json);

    Format format_;
    std::ostream &out_;
    JsonArray json_;
    Table table_;
    size_t num_pages_ = 0;
};

}  // namespace tool
