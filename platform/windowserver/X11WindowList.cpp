#include "platform/windowserver/X11WindowList.h"

#include <unistd.h>
#include <xcb/res.h>

#include <algorithm>
#include <span>
#include <unordered_map>
#include <utility>

#include "platform/base/Bundle.h"
#include "platform/windowserver/X11WindowFacts.h"
#include "platform/windowserver/displayLayout.h"

namespace vorla {
namespace {

constexpr uint32_t stateNormal = 1;  // WM_STATE, as the inter-client conventions number it
constexpr uint32_t everyDesktop = 0xffffffffU;
constexpr int clientSearchDepth = 3;
constexpr uint32_t mostClients = 4096;

std::vector<xcb_window_t> childrenOf(const xcb_query_tree_reply_t& tree) {
    const xcb_window_t* children = xcb_query_tree_children(&tree);
    return {children, children + xcb_query_tree_children_length(&tree)};
}

}  // namespace

struct X11WindowList::Candidate {
    X11Window window;
    bool overrideRedirect = false;
    bool isManaged = false;  ///< a window with a manager's state was found in it
    bool isGone = false;
    uint32_t wmState = stateNormal;
    bool isHidden = false;
    uint32_t desktop = everyDesktop;
    std::vector<xcb_window_t> children;  ///< to be searched for the client next
};

int32_t layerOf(const X11LayerFacts& facts) {
    if (facts.isDesktop) return -20;
    if (facts.isDock) return 20;
    if (facts.isUnmanaged) return 101;
    if (facts.isFullScreen) return 24;
    if (facts.isAbove) return 3;
    if (facts.isBelow) return -1;
    return 0;
}

PixelRect visibleFrameOf(const PixelRect& outer, const PixelRect& content,
                         const std::vector<uint32_t>& gtkExtents,
                         const std::vector<uint32_t>& frameExtents) {
    constexpr uint32_t most = 1000;  // wider than any margin: the value is not to be believed
    const auto usable = [](const std::vector<uint32_t>& extents) {
        return extents.size() == 4 &&
               std::all_of(extents.begin(), extents.end(), [](uint32_t v) { return v < most; });
    };
    const auto grown = [](const PixelRect& rect, const std::vector<uint32_t>& by, int sign) {
        const auto e = [&by, sign](size_t i) { return sign * static_cast<int>(by[i]); };
        return PixelRect{rect.x - e(0), rect.y - e(2), rect.width + e(0) + e(1),
                         rect.height + e(2) + e(3)};
    };
    PixelRect visible = outer;
    if (usable(gtkExtents)) {
        visible = grown(outer, gtkExtents, -1);
    } else if (usable(frameExtents)) {
        visible = intersectionOf(outer, grown(content, frameExtents, 1));
    }
    return visible.width > 0 && visible.height > 0 ? visible : outer;
}

X11WindowList::X11WindowList(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)), hostName_(hostName()) {}

std::vector<X11WindowList::Candidate> X11WindowList::readTopLevels(
    const std::vector<xcb_window_t>& tops) {
    struct Asked {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
        xcb_query_tree_cookie_t tree;
    };
    xcb_connection_t* c = connection_->get();
    std::vector<Asked> asked;
    asked.reserve(tops.size());
    for (const xcb_window_t top : tops)
        asked.push_back(
            {xcb_get_window_attributes(c, top), xcb_get_geometry(c, top), xcb_query_tree(c, top)});
    std::vector<Candidate> candidates;
    for (size_t i = 0; i < tops.size(); ++i) {
        const auto attributes =
            connection_->reply(&xcb_get_window_attributes_reply, asked[i].attributes);
        const auto geometry = connection_->reply(&xcb_get_geometry_reply, asked[i].geometry);
        const auto tree = connection_->reply(&xcb_query_tree_reply, asked[i].tree);
        if (!attributes || !geometry || !tree || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT || geometry->width <= 1 ||
            geometry->height <= 1)
            continue;
        Candidate candidate;
        X11Window& window = candidate.window;
        window.top = window.client = tops[i];
        window.border = geometry->border_width;
        window.outer = {geometry->x, geometry->y, geometry->width + 2 * window.border,
                        geometry->height + 2 * window.border};
        window.visual = attributes->visual;
        window.hasAlpha = connection_->layoutOf(window.visual) == PixelLayout::Argb32;
        candidate.overrideRedirect = attributes->override_redirect != 0;
        candidate.children = childrenOf(*tree);
        candidates.push_back(std::move(candidate));
    }
    return candidates;
}

/// Frames of window managers hold the client a few levels down: each round looks one level deeper
/// in all the windows that have not shown a client yet. A client is one that the manager lists, and
/// then is known without asking; without a list, one that has a manager's state.
void X11WindowList::findClients(std::vector<Candidate>& candidates, const ManagedWindows& managed) {
    struct Asked {
        Candidate* candidate;
        xcb_window_t window;
        std::optional<xcb_get_property_cookie_t> state;
        std::optional<xcb_query_tree_cookie_t> tree;
    };
    const auto isListed = [&managed](xcb_window_t window) { return managed->count(window) != 0; };
    const auto take = [](Candidate& candidate, xcb_window_t client) {
        candidate.isManaged = true;
        candidate.window.client = client;
        candidate.children.clear();
    };
    for (int depth = 0; depth <= clientSearchDepth; ++depth) {
        std::vector<Asked> asked;
        for (Candidate& candidate : candidates) {
            if (candidate.isManaged) continue;
            // The first round looks at the top itself, whose children are known already.
            std::vector<xcb_window_t> level;
            if (depth > 0) level = std::exchange(candidate.children, {});
            // Nobody manages a window that bypasses the manager, whatever its properties say (its
            // number may have been another window's a moment ago).
            if (depth == 0 && !candidate.overrideRedirect) level = {candidate.window.top};
            if (managed) {
                const auto client = std::find_if(level.begin(), level.end(), isListed);
                if (client != level.end()) take(candidate, *client);
            }
            for (const xcb_window_t window : level) {
                if (candidate.isManaged) break;
                Asked one{&candidate, window, {}, {}};
                if (!managed)
                    one.state =
                        connection_->askProperty(window, connection_->atom(X11Atom::WmState));
                if (depth > 0 && depth < clientSearchDepth)
                    one.tree = xcb_query_tree(connection_->get(), window);
                asked.push_back(one);
            }
        }
        for (const Asked& one : asked) {
            const auto state = one.state ? connection_->property(*one.state) : nullptr;
            const auto tree =
                one.tree ? connection_->reply(&xcb_query_tree_reply, *one.tree) : nullptr;
            if (one.candidate->isManaged) continue;
            if (!wordsOf(state.get()).empty()) {
                take(*one.candidate, one.window);
            } else if (tree) {
                const auto more = childrenOf(*tree);
                auto& children = one.candidate->children;
                children.insert(children.end(), more.begin(), more.end());
            }
        }
    }
}

void X11WindowList::readProcessIds(std::vector<Candidate>& candidates) {
    if (!connection_->extensions().clientIds || candidates.empty()) return;
    const uint32_t clientMask = ~xcb_get_setup(connection_->get())->resource_id_mask;
    std::vector<xcb_res_client_id_spec_t> specs;
    for (const Candidate& candidate : candidates)
        specs.push_back({candidate.window.client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    const auto reply = connection_->reply(
        &xcb_res_query_client_ids_reply,
        xcb_res_query_client_ids(connection_->get(), static_cast<uint32_t>(specs.size()),
                                 specs.data()));
    if (!reply) return;
    std::unordered_map<uint32_t, int32_t> pids;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0;
         xcb_res_client_id_value_next(&it))
        if (xcb_res_client_id_value_value_length(it.data) > 0)
            pids[it.data->spec.client & clientMask] =
                static_cast<int32_t>(*xcb_res_client_id_value_value(it.data));
    for (Candidate& candidate : candidates)
        if (const auto pid = pids.find(candidate.window.client & clientMask); pid != pids.end())
            if (pid->second > 0) candidate.window.pid = pid->second;
}

void X11WindowList::readDetails(std::vector<Candidate>& candidates) {
    std::vector<X11WindowQuery> asked;
    asked.reserve(candidates.size());
    for (const Candidate& candidate : candidates)
        asked.emplace_back(*connection_, candidate.window.client);
    readProcessIds(candidates);
    const auto words = [this](xcb_get_property_cookie_t cookie) {
        const auto property = connection_->property(cookie);
        const auto span = wordsOf(property.get());
        return std::vector<uint32_t>(span.begin(), span.end());
    };
    for (size_t i = 0; i < candidates.size(); ++i) {
        Candidate& candidate = candidates[i];
        X11Window& window = candidate.window;
        const auto geometry = connection_->reply(&xcb_get_geometry_reply, asked[i].geometry);
        const auto place = connection_->reply(&xcb_translate_coordinates_reply, asked[i].place);
        const std::vector<uint32_t> managerState = words(asked[i].managerState);
        const auto windowClass = connection_->property(asked[i].windowClass);
        const std::vector<uint32_t> claimedPid = words(asked[i].pid);
        const auto machine = connection_->property(asked[i].machine);
        const std::vector<uint32_t> types = words(asked[i].types);
        const std::vector<uint32_t> states = words(asked[i].states);
        const std::vector<uint32_t> desktop = words(asked[i].desktop);
        const std::vector<uint32_t> gtkExtents = words(asked[i].gtkExtents);
        const std::vector<uint32_t> frameExtents = words(asked[i].frameExtents);
        candidate.isGone = !geometry || !place;
        if (candidate.isGone) continue;
        const auto has = [this](const std::vector<uint32_t>& list, X11Atom name) {
            return std::find(list.begin(), list.end(), connection_->atom(name)) != list.end();
        };
        window.content = {place->dst_x, place->dst_y, geometry->width, geometry->height};
        window.visible = visibleFrameOf(window.outer, window.content, gtkExtents, frameExtents);
        window.layer = layerOf(
            {has(types, X11Atom::NetWmWindowTypeDesktop), has(types, X11Atom::NetWmWindowTypeDock),
             has(states, X11Atom::NetWmStateFullscreen), has(states, X11Atom::NetWmStateAbove),
             has(states, X11Atom::NetWmStateBelow),
             candidate.overrideRedirect && !candidate.isManaged});
        if (!managerState.empty()) candidate.wmState = managerState[0];
        candidate.isHidden = has(states, X11Atom::NetWmStateHidden);
        if (!desktop.empty()) candidate.desktop = desktop[0];
        const bool isLocal = textOf(machine.get()) == hostName_;
        const int32_t claimed =
            isLocal && !claimedPid.empty() ? static_cast<int32_t>(claimedPid[0]) : -1;
        // Where processes are numbered differently for the server (in a container), what a window
        // of ours says about itself still shows that it is ours.
        if (window.pid < 0 || claimed == getpid()) window.pid = claimed;
        window.ownerName =
            window.pid == getpid() ? HostIdentity::displayName() : classNameOf(windowClass.get());
        if (window.ownerName.empty()) window.ownerName = processName(window.pid);
    }
}

uint32_t X11WindowList::currentDesktop(xcb_get_property_cookie_t cookie) {
    const auto property = connection_->property(cookie);
    const auto words = wordsOf(property.get());
    return words.empty() ? everyDesktop : words[0];
}

bool X11WindowList::isOnScreen(const Candidate& candidate, uint32_t desktop) const {
    if (candidate.isGone) return false;
    if (!candidate.isManaged) return true;
    if (candidate.isHidden || candidate.wmState != stateNormal) return false;
    // Compositing window managers keep windows of other workspaces mapped.
    return candidate.desktop == everyDesktop || desktop == everyDesktop ||
           candidate.desktop == desktop;
}

std::optional<std::vector<X11Window>> X11WindowList::read(const std::vector<Display>& displays) {
    xcb_connection_t* c = connection_->get();
    const auto treeCookie = xcb_query_tree(c, connection_->root());
    const auto desktopCookie = connection_->askProperty(
        connection_->root(), connection_->atom(X11Atom::NetCurrentDesktop), 1);
    const auto clientsCookie = connection_->askProperty(
        connection_->root(), connection_->atom(X11Atom::NetClientList), mostClients);
    const auto tree = connection_->reply(&xcb_query_tree_reply, treeCookie);
    const uint32_t desktop = currentDesktop(desktopCookie);
    const auto clients = connection_->property(clientsCookie);
    if (!tree || !connection_->isAlive()) return std::nullopt;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    std::vector<xcb_window_t> tops(children, children + xcb_query_tree_children_length(tree.get()));
    std::reverse(tops.begin(), tops.end());

    std::vector<Candidate> candidates = readTopLevels(tops);
    const auto isSeen = [&displays](const PixelRect& rect) {
        return std::any_of(displays.begin(), displays.end(), [&rect](const Display& display) {
            return intersectionOf(display.nativeFrame, rect).width > 0;
        });
    };
    std::erase_if(candidates, [&](const Candidate& w) { return !isSeen(w.window.outer); });
    ManagedWindows managed;
    if (const auto words = wordsOf(clients.get()); !words.empty())
        managed.emplace(words.begin(), words.end());
    findClients(candidates, managed);
    readDetails(candidates);
    std::vector<X11Window> windows;
    for (Candidate& candidate : candidates)
        if (isOnScreen(candidate, desktop) && isSeen(candidate.window.visible))
            windows.push_back(std::move(candidate.window));
    if (!connection_->isAlive()) return std::nullopt;
    return windows;
}

xcb_window_t X11WindowList::topLevelOf(xcb_window_t window) {
    constexpr int deepest = 32;
    for (int depth = 0; depth < deepest; ++depth) {
        const auto tree =
            connection_->reply(&xcb_query_tree_reply, xcb_query_tree(connection_->get(), window));
        if (!tree || tree->parent == XCB_NONE) return XCB_NONE;
        if (tree->parent == connection_->root()) return window;
        window = tree->parent;
    }
    return XCB_NONE;
}

std::optional<X11Window> X11WindowList::readOne(xcb_window_t number) {
    const xcb_window_t top = topLevelOf(number);
    if (top == XCB_NONE) return std::nullopt;
    std::vector<Candidate> candidates = readTopLevels({top});
    for (Candidate& candidate : candidates) {
        candidate.window.client = number;
        candidate.isManaged = number != top;
    }
    readDetails(candidates);
    if (candidates.empty() || candidates[0].isGone) return std::nullopt;
    return std::move(candidates[0].window);
}

std::string X11WindowList::ownerNameOf(xcb_window_t client) {
    std::vector<Candidate> candidates(1);
    candidates[0].window.client = client;
    readDetails(candidates);
    return candidates[0].isGone ? std::string() : candidates[0].window.ownerName;
}

std::string X11WindowList::activeOwnerName() {
    const auto activeCookie = connection_->askProperty(
        connection_->root(), connection_->atom(X11Atom::NetActiveWindow), 1);
    const auto focusCookie = xcb_get_input_focus(connection_->get());
    const auto active = connection_->property(activeCookie);
    const auto focus = connection_->reply(&xcb_get_input_focus_reply, focusCookie);
    if (const auto words = wordsOf(active.get()); !words.empty() && words[0] != XCB_NONE) {
        std::string name = ownerNameOf(words[0]);
        if (!name.empty()) return name;
    }
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return {};
    // The keyboard may be with a window inside the one that states its class.
    xcb_window_t window = focus->focus;
    while (window != XCB_NONE && window != connection_->root()) {
        const auto classCookie = connection_->askProperty(window, XCB_ATOM_WM_CLASS);
        const auto treeCookie = xcb_query_tree(connection_->get(), window);
        const auto windowClass = connection_->property(classCookie);
        const auto tree = connection_->reply(&xcb_query_tree_reply, treeCookie);
        if (!classNameOf(windowClass.get()).empty()) return ownerNameOf(window);
        window = tree ? tree->parent : xcb_window_t{XCB_NONE};
    }
    return {};
}

}  // namespace vorla
