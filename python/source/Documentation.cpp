#include "Documentation.h"

#include <deque>
#include <map>
#include <stdexcept>
#include <vector>

namespace ZdkPython
{

namespace
{

struct Comment
{
    const char* name;
    const char* text;
};

constexpr Comment kComments[] = {
#include "Comments.inc"
};

std::map<std::string, std::vector<const char*>> ByName()
{
    std::map<std::string, std::vector<const char*>> comments;
    for (const Comment& comment : kComments)
    {
        comments[comment.name].push_back(comment.text);
    }
    return comments;
}

} // namespace

const char* Documentation(const std::string& name, std::size_t index, const char* ending)
{
    static const std::map<std::string, std::vector<const char*>> comments = ByName();
    static std::deque<std::string> completed; // a deque leaves the texts where they are
    const auto found = comments.find(name);
    if (found == comments.end() || index >= found->second.size())
    {
        throw std::logic_error("No comment on " + name + " in the headers");
    }
    const char* text = found->second[index];
    return ending == nullptr ? text : completed.emplace_back(std::string(text) + "\n" + ending).c_str();
}

} // namespace ZdkPython
