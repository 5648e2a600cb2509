// SPDX-License-Identifier: GPL-3.0-or-later
// CriticMarkup: shown with its changes, or with all of them accepted or rejected.
#include "engine/html/Html.h"

#include "engine/ScratchPad.h"

namespace tomelet::engine {

namespace {

struct critic_tags
{
    std::string_view open, close;
};

constexpr critic_tags insertion = {"<ins>", "</ins>"};
constexpr critic_tags deletion = {"<del>", "</del>"};
constexpr critic_tags comment = {"<span class=\"critic comment\">", "</span>"};
constexpr critic_tags highlight = {"<mark>", "</mark>"};

// `drops` is the extension that leaves the text out, `keeps` the one that shows it without tags.
void export_change(d_string *out, const char *source, token *t, scratch_pad &scratch, const critic_tags &tags,
                   uint32_t drops, uint32_t keeps)
{
    if (scratch.has(drops)) return;
    empty_delimiters(t);
    const bool tagged = !scratch.has(keeps);
    if (tagged) print(out, tags.open);
    mmd_export_token_tree_html(out, source, t->child, scratch);
    if (tagged) print(out, tags.close);
}

void export_addition(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    export_change(out, source, t, scratch, insertion, EXT_CRITIC_REJECT, EXT_CRITIC_ACCEPT);
}

void export_deletion(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    export_change(out, source, t, scratch, deletion, EXT_CRITIC_ACCEPT, EXT_CRITIC_REJECT);
}

std::string_view unmatched_text(uint16_t type)
{
    switch (type) {
    case CRITIC_ADD_OPEN: return "{++";
    case CRITIC_ADD_CLOSE: return "++}";
    case CRITIC_DEL_OPEN: return "{--";
    case CRITIC_DEL_CLOSE: return "--}";
    case CRITIC_COM_OPEN: return "{&gt;&gt;";
    case CRITIC_COM_CLOSE: return "&lt;&lt;}";
    case CRITIC_SUB_OPEN: return "{~~";
    case CRITIC_SUB_DIV: return "~&gt;";
    case CRITIC_SUB_DIV_A: return "~";
    case CRITIC_SUB_DIV_B: return "&gt;";
    case CRITIC_SUB_CLOSE: return "~~}";
    case CRITIC_HI_OPEN: return "{==";
    case CRITIC_HI_CLOSE: return "==}";
    default: return {};
    }
}

} // namespace

bool export_critic_html(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    switch (t->type) {
    case PAIR_CRITIC_ADD: export_addition(out, source, t, scratch); return true;
    case PAIR_CRITIC_DEL: export_deletion(out, source, t, scratch); return true;
    case PAIR_CRITIC_COM:
        export_change(out, source, t, scratch, comment, EXT_CRITIC_ACCEPT | EXT_CRITIC_REJECT, 0);
        return true;
    case PAIR_CRITIC_HI:
        export_change(out, source, t, scratch, highlight, 0, EXT_CRITIC_ACCEPT | EXT_CRITIC_REJECT);
        return true;
    case PAIR_CRITIC_SUB_DEL: // a substitution only as a whole
        if (!t->next || t->next->type != PAIR_CRITIC_SUB_ADD) return false;
        export_deletion(out, source, t, scratch);
        return true;
    case PAIR_CRITIC_SUB_ADD:
        if (!t->prev || t->prev->type != PAIR_CRITIC_SUB_DEL) return false;
        export_addition(out, source, t, scratch);
        return true;
    default:
        if (t->type < CRITIC_ADD_OPEN || t->type > CRITIC_HI_CLOSE) return false;
        print(out, unmatched_text(t->type));
        return true;
    }
}

} // namespace tomelet::engine
