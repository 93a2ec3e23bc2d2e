# Stands for OpenWrt's package.mk: folders of a build, and BuildPackage with the targets of one package.
#   prepare, configure, compile   the steps of the source
#   install-NAME                  the files of a package below $(DESTINATION)/NAME
#   describe-NAME                 its fields, one a line
PKG_BUILD_DIR := $(BUILD_DIR)/$(PKG_NAME)-$(PKG_VERSION)
PKG_INSTALL_DIR := $(PKG_BUILD_DIR)/ipkg-install
DESTINATION ?= $(BUILD_DIR)/packages
PACKAGE_FIELDS := SECTION CATEGORY SUBMENU TITLE DEPENDS CONFLICTS PKGARCH

.PHONY: prepare configure compile all
all:

prepare:
	$(call Build/Prepare)

configure: prepare
	$(call Build/Configure)

compile: configure
	$(call Build/Compile)
	$(call Build/Install)

# The fields of a define are lines "  NAME:=value": made into assignments of the package's own targets.
define BuildPackage
$(if $(Package/$(1)/install),,$(error $(1) has no install))
.PHONY: install-$(1) describe-$(1)
all: install-$(1)
$(eval $(Package/$(1)))
$(foreach field,$(PACKAGE_FIELDS),$(eval $(1)_$(field) := $($(field)))$(eval $(field) :=))
install-$(1): compile
	$$(call Package/$(1)/install,$(DESTINATION)/$(1))
describe-$(1):
	@$(foreach field,$(PACKAGE_FIELDS),echo '$(field): $($(1)_$(field))';)
	@echo 'VERSION: $(PKG_VERSION)-$(PKG_RELEASE)'
	@echo 'LICENSE: $(PKG_LICENSE)'
	@echo 'conffiles: $$(strip $$(Package/$(1)/conffiles))'
endef
