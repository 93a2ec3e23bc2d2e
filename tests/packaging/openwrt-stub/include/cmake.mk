# Stands for OpenWrt's cmake.mk: configure, build and install below PKG_INSTALL_DIR.
CMAKE_BINARY_DIR := $(PKG_BUILD_DIR)/build

define Build/Configure
	cmake -S $(PKG_BUILD_DIR) -B $(CMAKE_BINARY_DIR) -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_BUILD_TYPE=Release $(CMAKE_OPTIONS) $(STUB_CMAKE_OPTIONS)
endef

define Build/Compile
	cmake --build $(CMAKE_BINARY_DIR)
endef

define Build/Install
	$(if $(CMAKE_INSTALL),DESTDIR=$(PKG_INSTALL_DIR) cmake --install $(CMAKE_BINARY_DIR))
endef
